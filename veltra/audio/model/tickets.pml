// SPDX-License-Identifier: MIT
/* Two hosts add an entry each, remove it, and destroy context and nodes as soon as they may, while
 * one thread iterates and another collects. Host 1 gives nodes of its own and goes by its ticket or
 * by its removal's node; host 2 leaves the nodes to the list and goes by its ticket.
 *
 * Checked over every interleaving of sequentially consistent steps: no context is called and no
 * node touched after its death, and no node dies twice. Each of these must be found at fault:
 *   -DTICKET_BY_APPLIED  a ticket is for the pass after the last one applied, not the last begun
 *   -DGIVE_BACK_FIRST    a removal's node is given back before the entry is out of the list
 *   -DDONE_FIRST         an entry is left to collect() before it is out of the list
 */
#define HOSTS 2
#define PASSES 3
#define NODES 4
#define ENTRY(host) ((host) * 2 - 1)
#define REMOVAL(host) ((host) * 2)
#define HOST(node) (((node) + 1) / 2)
#define IS_REMOVAL(node) ((node) % 2 == 0)
#define IS_OWN(node) (HOST(node) == 1)

byte pending = 0, done = 0;      /* a node's number; 0 is null */
byte head = 0;
byte begun = 0, applied = 0;
byte next[NODES + 1];
bool isInUse[NODES + 1];
bool isDead[NODES + 1];          /* nodes */
bool isGone[HOSTS + 1];          /* contexts */

inline touch(node) {
    assert(!isDead[node])
}

inline push(node) {
    isInUse[node] = true;
    pushed = false;
    do
    :: !pushed ->
        top = pending;
        next[node] = top;
        atomic {
            if
            :: pending == top -> pending = node; pushed = true
            :: else
            fi
        }
    :: pushed -> break
    od
}

inline ticket() {
#ifdef TICKET_BY_APPLIED
    due = applied + 1
#else
    due = begun + 1
#endif
}

proctype Host(byte host) {
    byte top, due;
    bool pushed, byNode;
    if
    :: host == 1 -> byNode = true
    :: byNode = false
    fi;
    push(ENTRY(host));
    push(REMOVAL(host));
    ticket();
endwaiting:
    (byNode && !isInUse[REMOVAL(host)]) || (!byNode && applied >= due);
    d_step {
        isGone[host] = true;
        if
        :: host == 1 ->
            isDead[ENTRY(host)] = true;
            isDead[REMOVAL(host)] = true
        :: else
        fi
    }
}

inline dispose(node) {
    if
    :: IS_OWN(node) -> isInUse[node] = false
    :: else ->
        touch(node);
        atomic { next[node] = done; done = node }
    fi
}

proctype Iterator() {
    byte pass, request, following, entry, before, added, last, node;
    bool isRemoved[HOSTS + 1];
    for (pass : 1 .. PASSES) {
        begun = pass;
        atomic { request = pending; pending = 0 }
        added = 0;
        d_step { isRemoved[1] = false; isRemoved[2] = false }
        do
        :: request != 0 ->
            touch(request);
            following = next[request];
            if
            :: IS_REMOVAL(request) ->
                isRemoved[HOST(request)] = true;
#ifdef GIVE_BACK_FIRST
                dispose(request)
#endif
            :: !IS_REMOVAL(request) && isRemoved[HOST(request)] -> dispose(request)
            :: else -> next[request] = added; added = request
            fi;
            request = following
        :: else -> break
        od;
        entry = head;
        before = 0;
        do
        :: entry != 0 ->
            touch(entry);
            if
            :: isRemoved[HOST(entry)] ->
#ifdef DONE_FIRST
                dispose(entry);
                touch(entry);
#endif
                following = next[entry];
                if
                :: before == 0 -> head = following
                :: else -> touch(before); next[before] = following
                fi;
#ifndef DONE_FIRST
                dispose(entry);
#endif
            :: else ->
                before = entry;
                following = next[entry]
            fi;
            entry = following
        :: else -> break
        od;
#ifndef GIVE_BACK_FIRST
        for (node : 1 .. HOSTS) {
            if
            :: isRemoved[node] -> dispose(REMOVAL(node))
            :: else
            fi
        }
#endif
        if
        :: before == 0 -> head = added
        :: else -> next[before] = added
        fi;
        applied = pass;

        entry = head;
        do
        :: entry != 0 ->
            touch(entry);
            following = next[entry];
            assert(!isGone[HOST(entry)]);   /* the call */
            assert(!isGone[HOST(entry)]);   /* which takes its time */
            entry = following
        :: else -> break
        od
    }
}

proctype Collector() {
    byte node, following;
endcollecting:
    do
    :: atomic { done != 0 -> node = done; done = 0 }
        do
        :: node != 0 ->
            touch(node);
            following = next[node];
            isDead[node] = true;
            node = following
        :: else -> break
        od
    od
}

init {
    atomic {
        run Host(1);
        run Host(2);
        run Iterator();
        run Collector()
    }
}
