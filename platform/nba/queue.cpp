#include "nba/nba.h"

// A zero-filled link counts as unlinked, as one that points at itself does.
namespace {

void insert_between(NBA_QUEUE* before, NBA_QUEUE* after, NBA_QUEUE* link, void* owner) {
    *link = NBA_QUEUE{after, before, owner};
    before->next = link;
    after->previous = link;
}

} // namespace

void nba_init_q(NBA_QUEUE* queue, void* owner) {
    *queue = NBA_QUEUE{queue, queue, owner};
}

void nba_add_to_q_tail(NBA_QUEUE* queue, NBA_QUEUE* link, void* owner) {
    nba_remove_from_q(link);
    insert_between(queue->previous, queue, link, owner);
}

void nba_add_to_q_head(NBA_QUEUE* queue, NBA_QUEUE* link, void* owner) {
    nba_remove_from_q(link);
    insert_between(queue, queue->next, link, owner);
}

void nba_remove_from_q(NBA_QUEUE* link) {
    if (link->next != nullptr) {
        link->next->previous = link->previous;
        link->previous->next = link->next;
    }
    nba_init_q(link, link->owner);
}

void* nba_get_q_head(const NBA_QUEUE* queue) {
    return nba_q_empty(queue) ? nullptr : queue->next->owner;
}

bool nba_q_empty(const NBA_QUEUE* queue) {
    return queue->next == nullptr || queue->next == queue;
}
