// The choice of a serial port: none, automatic, those that are there by their adapters' names, or a typed one.
// Graphical thread only.
#pragma once

#include <QString>
#include <string>
#include <vector>

class QComboBox;

namespace numalink {

// A port as the settings name it, and what the user sees of it.
struct OfferedPort {
    std::string value;
    QString words;
};

// The ports that are there. The link puts in what lists them; without it there are none.
inline std::vector<OfferedPort> (*listSerialPorts)() = [] { return std::vector<OfferedPort>(); };

// Which port it is for: the link's can be found by itself, that of programs is none where it is empty.
enum class PortOf { link, programs };

QComboBox *makePortChoice(const std::string &value, PortOf use);
std::string portChosen(const QComboBox &box);

}  // namespace numalink
