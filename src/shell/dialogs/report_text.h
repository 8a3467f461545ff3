// What a report of a fault holds. Graphical thread only.
#pragma once

#include <QString>
#include <string>
#include <vector>

namespace numalink {

// Version, build, system, settings, events and, where one is kept, the trace of the wire, in English. No item's
// content, no password, no adapter's serial number, and of paths below the user's home only that they are there.
// before: the events of a run that ended badly, or nothing.
QString reportText(const std::vector<std::string> &before);

// Paths below home, in whatever text, become "~/...". Pure.
QString withoutHome(const QString &text, const QString &home);

// The names that the system has for serial ports, without the number that only this adapter has. Pure.
QString withoutSerialNumbers(const QString &text);

}  // namespace numalink
