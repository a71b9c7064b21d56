// SPDX-License-Identifier: MIT
/* Voices that come and go while an audio thread plays them, from C.
 *
 * The audio thread only ever iterates. A voice brings the memory of its two requests along, so that
 * adding and removing it allocate nothing, and is freed when its ticket says that the audio thread
 * is done with it. */
#include "veltra/audio/callback_list_c.h"

#include <pthread.h>
#include <sched.h>
#include <stdatomic.h>
#include <stdio.h>
#include <stdlib.h>

enum { kBlockFrames = 256 };

typedef struct Voice {
    float level;
    atomic_int blocks;
    VLCallbackNode entry;
    VLCallbackNode removal;
} Voice;

typedef struct Player {
    VLCallbackList* voices;
    atomic_bool is_playing;
} Player;

static void render(void* context, uint32_t message, void* data) {
    Voice* voice = context;
    float* block = data;
    (void)message;
    for (int i = 0; i < kBlockFrames; ++i)
        block[i] += voice->level;
    atomic_fetch_add(&voice->blocks, 1);
}

static void* play(void* argument) {
    Player* player = argument;
    while (atomic_load(&player->is_playing)) {
        float block[kBlockFrames] = {0};
        VLCallbackListIterate(player->voices, 0, block);
    }
    return NULL;
}

static Voice* new_voice(float level) {
    Voice* voice = calloc(1, sizeof *voice);
    if (voice == NULL) abort();
    voice->level = level;
    VLCallbackNodeInit(&voice->entry);
    VLCallbackNodeInit(&voice->removal);
    return voice;
}

/* A host does not wait: it looks again in a timer. */
static void wait_for_blocks(Voice* voice, int count) {
    while (atomic_load(&voice->blocks) < count)
        sched_yield();
}

int main(void) {
    Player player = {.voices = VLCallbackListCreate(), .is_playing = true};
    pthread_t audio;
    if (player.voices == NULL || pthread_create(&audio, NULL, play, &player) != 0) return 1;

    Voice* low = new_voice(0.5F);
    Voice* high = new_voice(0.25F);
    VLCallbackListAddWithNode(player.voices, &low->entry, low, render);
    VLCallbackListAddWithNode(player.voices, &high->entry, high, render);
    wait_for_blocks(high, 100);

    VLCallbackTicket gone;
    VLCallbackListRemoveWithNode(player.voices, &high->removal, high, &gone);
    while (!VLCallbackTicketIsSafe(&gone))
        sched_yield();
    const int played = atomic_load(&high->blocks);
    const bool is_given_back = VLCallbackNodeIsFree(&high->entry);
    free(high);

    wait_for_blocks(low, played + 100);
    atomic_store(&player.is_playing, false);
    pthread_join(audio, NULL);
    VLCallbackListDestroy(player.voices); /* gives the nodes of the low voice back */

    printf("the high voice played %d blocks, the low one %d\n", played, atomic_load(&low->blocks));
    const bool is_longer = atomic_load(&low->blocks) > played;
    free(low);
    return is_given_back && is_longer ? 0 : 1;
}
