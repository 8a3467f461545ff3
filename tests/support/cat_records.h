// Records of the text exchange format, as short as readers take them.
#pragma once

#include <string>

namespace numalink {

inline std::string catProgram(const std::string &name, const std::string &lines = "A") {
    return "%Header Record\r\nFormat:TXT\r\nData Type:PG\r\nCapacity:5\r\nFile Name:" + name + "\r\n%Data Record\r\n" +
           lines + "\r\n%End\r\n";
}

// Values as in "Value : 1 1 2\r\n"; type is MT or LT.
inline std::string catValues(const std::string &type, const std::string &name, int rows, int columns,
                             const std::string &values) {
    return "%Header Record\r\nFormat:VAL\r\nData Type:" + type + "\r\nRows:" + std::to_string(rows) +
           "\r\nColumns:" + std::to_string(columns) + "\r\nVariable Name:" + name + "\r\n%Data Record\r\n" + values +
           "%End\r\n";
}

}  // namespace numalink
