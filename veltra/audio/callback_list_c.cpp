// SPDX-License-Identifier: MIT
#include "veltra/audio/callback_list_c.h"

#include "veltra/audio/callback_list.h"

#include <bit>
#include <new>
#include <optional>
#include <type_traits>

namespace veltra {

struct VLCallbackList {
    CallbackList list;
};

namespace {

using Node = CallbackList::Node;
using Ticket = CallbackList::Ticket;

static_assert(sizeof(Node) <= sizeof(VLCallbackNode));
static_assert(alignof(Node) <= alignof(VLCallbackNode));
static_assert(std::is_trivially_destructible_v<Node>);
static_assert(sizeof(Ticket) == sizeof(VLCallbackTicket));

Node* nodeIn(VLCallbackNode* memory) noexcept {
    return std::launder(reinterpret_cast<Node*>(memory));
}

bool handOver(const std::optional<Ticket>& given, VLCallbackTicket* ticket) noexcept {
    if (ticket != nullptr)
        *ticket = given.has_value() ? std::bit_cast<VLCallbackTicket>(*given) : VLCallbackTicket{};
    return given.has_value();
}

}  // namespace

VLCallbackList* VLCallbackListCreate() noexcept {
    return new (std::nothrow) VLCallbackList;
}

void VLCallbackListDestroy(VLCallbackList* list) noexcept {
    delete list;
}

void VLCallbackNodeInit(VLCallbackNode* node) noexcept {
    if (node != nullptr) new (node) Node;
}

bool VLCallbackNodeIsFree(const VLCallbackNode* node) noexcept {
    return node != nullptr && std::launder(reinterpret_cast<const Node*>(node))->isFree();
}

bool VLCallbackListAdd(VLCallbackList* list, void* context, VLCallback callback) noexcept {
    return list != nullptr && list->list.add(context, callback);
}

bool VLCallbackListAddWithNode(VLCallbackList* list, VLCallbackNode* node, void* context,
                               VLCallback callback) noexcept {
    if (list == nullptr || node == nullptr) return false;
    return list->list.add(*nodeIn(node), context, callback);
}

bool VLCallbackListRemove(VLCallbackList* list, void* context, VLCallbackTicket* ticket) noexcept {
    return handOver(list != nullptr ? list->list.remove(context) : std::nullopt, ticket);
}

bool VLCallbackListRemoveWithNode(VLCallbackList* list, VLCallbackNode* node, void* context,
                                  VLCallbackTicket* ticket) noexcept {
    if (list == nullptr || node == nullptr) return handOver(std::nullopt, ticket);
    return handOver(list->list.remove(*nodeIn(node), context), ticket);
}

bool VLCallbackTicketIsSafe(const VLCallbackTicket* ticket) noexcept {
    if (ticket == nullptr || ticket->list == nullptr) return false;
    return std::bit_cast<Ticket>(*ticket).isSafe();
}

void VLCallbackListIterate(VLCallbackList* list, uint32_t message, void* data) noexcept {
    if (list != nullptr) list->list.iterate(message, data);
}

size_t VLCallbackListCollect(VLCallbackList* list) noexcept {
    return list != nullptr ? list->list.collect() : 0;
}

}  // namespace veltra
