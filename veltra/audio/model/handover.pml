// SPDX-License-Identifier: MIT
/* One thread adds to a sum in the slots of a handover, one takes.
 *
 * Checked over every interleaving of sequentially consistent steps: the two are never at one slot,
 * and what the reader takes adds up to what was written. With -DSAME_SLOT the writer does not
 * change to the other slot when the last one was taken; with -DLEAVE_OFFERED it works on a slot
 * that is still on offer: then a check must fail.
 */
#define NONE 2
#define CHANGES 4
#define TAKES 3

byte sum[2];
byte offered = NONE;
byte writerAt = NONE;
byte readerAt = NONE;
byte working = 2;            /* threads still at work */
byte total = 0;

proctype Writer() {
    byte i, back, seen;
    byte last = 1;
    for (i : 1 .. CHANGES) {
#ifdef LEAVE_OFFERED
        back = offered;
#else
        atomic { back = offered; offered = NONE }
#endif
        if
        :: back == NONE ->
#ifndef SAME_SLOT
            last = 1 - last;
#endif
            writerAt = last;
            assert(readerAt != last);
            sum[last] = 0
        :: else -> writerAt = last
        fi;
        assert(readerAt != last);
        seen = sum[last];
        sum[last] = seen + i;
        writerAt = NONE;
        offered = last
    }
    working--
}

inline take() {
    atomic {
        taken = offered;
        offered = NONE;
        readerAt = taken
    }
    if
    :: taken != NONE ->
        assert(writerAt != taken);
        total = total + sum[taken];
        readerAt = NONE
    :: else
    fi
}

proctype Reader() {
    byte i, taken;
    for (i : 1 .. TAKES) { take() }
    working--
}

init {
    byte taken;
    atomic { run Writer(); run Reader() }
    working == 0;
    take();
    assert(total == 10)
}
