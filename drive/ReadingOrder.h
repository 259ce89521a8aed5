#ifndef QUILLSET_DRIVE_READING_ORDER_H
#define QUILLSET_DRIVE_READING_ORDER_H

#include <Elementary.h>
#include <nlohmann/json.hpp>

#include "ScreenReader.h"

// What a screen reader says on the top screen, stop by stop: each element it can highlight
// with its name, description and role, in the order a swipe moves through them (tree order,
// with flows-to relations taking precedence).
class ReadingOrder {
public:
    explicit ReadingOrder(const ScreenReader &reader) : _reader(reader) {}

    // {"page", "popup", "announces" (what a popup says as it opens), "order": [{"name",
    // "description", "role", "reads" (what is spoken), "tappable", "flows_to"}...]}
    nlohmann::json read() const;

private:
    const ScreenReader &_reader;
};

#endif
