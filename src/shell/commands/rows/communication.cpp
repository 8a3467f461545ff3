// What the Communication menu holds.
#include "shell/commands/rows/rows.h"

#include "link/transmit_queue.h"
#include "shell/commands/link_commands.h"

namespace numalink {

namespace {

using enum MenuPosition;

constexpr Command rows[] = {
    {.id = CommandId::transmitQueue,
     .menu = communication,
     .text = Text::menuTransmitQueue,
     .shortcut = "F9",
     .tip = Text::tipTransmitQueue,
     .storesFirst = true,
     .enabled = transmitCanBegin,
     .run = [] { beginTransmit(); }},
    {.id = CommandId::showQueue, .menu = communication, .text = Text::menuShowQueue, .run = openQueueWindow},
};

}  // namespace

std::span<const Command> communicationRows() { return rows; }

}  // namespace numalink
