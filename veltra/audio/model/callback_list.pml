// SPDX-License-Identifier: MIT
/* Three threads add a node each while one iterates twice; then the list is destroyed.
 *
 * Checked over every interleaving of sequentially consistent steps: no call is refused, no node is
 * lost, each is applied exactly once, and the count is 0 at rest, so that the destructor's swap to
 * -1 succeeds. With -DPLAIN_COUNT the count is changed by a load and a store, as a plain integer
 * would be: then calls lose each other's update, and a check must fail.
 */
#define ADDERS 3
#define PASSES 2

short users = 0;
byte pending = 0;            /* a node's number; 0 is null */
byte next[ADDERS + 1];
byte applied[ADDERS + 1];
byte working = 0;            /* threads still at work */

#ifdef PLAIN_COUNT
#define COUNT(by) seen = users; users = seen + (by)
#else
#define COUNT(by) users = users + (by)
#endif

inline enter() {
    assert(users >= 0);      /* a negative count refuses the call, for good */
    COUNT(1)
}

inline leave() {
    COUNT(-1)
}

proctype Adder(byte node) {
    short seen;
    byte top;
    bool done = false;
    enter();
    do
    :: !done ->
        top = pending;
        next[node] = top;
        atomic {
            if
            :: pending == top -> pending = node; done = true
            :: else
            fi
        }
    :: done -> break
    od;
    leave();
    working--
}

inline applyTaken() {
    atomic { taken = pending; pending = 0 }
    do
    :: taken != 0 -> applied[taken]++; taken = next[taken]
    :: else -> break
    od
}

proctype Iterator() {
    short seen;
    byte taken, pass;
    for (pass : 1 .. PASSES) {
        enter();
        applyTaken();
        leave()
    }
    working--
}

init {
    byte node, taken;
    atomic {
        working = ADDERS + 1;
        for (node : 1 .. ADDERS) { run Adder(node) }
        run Iterator()
    }
    working == 0;
    assert(users == 0);
    users = -1;
    applyTaken();            /* what the destructor would find still queued */
    for (node : 1 .. ADDERS) { assert(applied[node] == 1) }
}
