#include "platform/posix/slots.h"

#include <cstring>

namespace orvex::posix {

namespace {

// Returns the head of the list. It is a local variable because the constructors of slots run before main in
// any order.
Slot*& FirstSlot() {
    static Slot* first = nullptr;
    return first;
}

}  // namespace

Slot::Slot(const char* slotName, void* slotTarget) : name(slotName), target(slotTarget), next(FirstSlot()) {
    FirstSlot() = this;
}

void** FindSlot(const char* name) {
    for (Slot* slot = FirstSlot(); slot != nullptr; slot = slot->next) {
        if (strcmp(slot->name, name) == 0) return &slot->target;
    }
    return nullptr;
}

std::vector<std::string> SlotNames() {
    std::vector<std::string> names;
    for (const Slot* slot = FirstSlot(); slot != nullptr; slot = slot->next) names.emplace_back(slot->name);
    return names;
}

}  // namespace orvex::posix
