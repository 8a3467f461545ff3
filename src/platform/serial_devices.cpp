// Which serial devices the system has, and what COM1 to COM4 mean among them.
#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <set>

#include "platform/serial_line.h"

namespace numalink {

namespace {

namespace fs = std::filesystem;

// Files of the folder whose name is prefix and digits, by rising number.
std::vector<std::string> numbered(const std::string &folder, const std::string &prefix) {
    std::vector<std::pair<int, std::string>> found;
    std::error_code ignored;
    for (const auto &entry : fs::directory_iterator(folder, ignored)) {
        const std::string name = entry.path().filename();
        const std::string number = name.starts_with(prefix) ? name.substr(prefix.size()) : "";
        const bool digits = !number.empty() && number.size() < 6 &&
                            std::ranges::all_of(number, [](char code) { return code >= '0' && code <= '9'; });
        if (digits) found.emplace_back(std::stoi(number), entry.path());
    }
    std::ranges::sort(found);
    std::vector<std::string> paths;
    paths.reserve(found.size());
    for (const auto &[number, path] : found) paths.push_back(path);
    return paths;
}

// Kernels make nodes for built-in ports that don't exist; the class folder tells them by type 0.
bool hasHardware(const std::string &path, const std::string &classFolder) {
    std::ifstream file(classFolder + "/" + fs::path(path).filename().string() + "/type");
    int type = 0;
    return !file || !(file >> type) || type != 0;
}

std::vector<std::string> builtInPorts(const std::string &deviceFolder, const std::string &classFolder) {
    std::vector<std::string> ports = numbered(deviceFolder, "ttyS");
    std::erase_if(ports, [&](const std::string &path) { return !hasHardware(path, classFolder); });
    return ports;
}

std::vector<std::string> usbPorts(const std::string &deviceFolder) {
    std::vector<std::string> ports = numbered(deviceFolder, "ttyUSB");
    std::ranges::copy(numbered(deviceFolder, "ttyACM"), std::back_inserter(ports));
    return ports;
}

constexpr std::size_t adapterNameLimit = 64;  // bytes
constexpr int usbDepth = 6;                   // folders from a port up to its adapter, at the most

std::string firstLine(const fs::path &path) {
    std::ifstream file(path);
    std::string line(adapterNameLimit, '\0');
    file.read(line.data(), static_cast<std::streamsize>(line.size()));
    line.resize(static_cast<std::size_t>(file.gcount()));
    line.resize(std::min(line.size(), line.find('\n')));
    std::erase_if(line, [](char code) { return static_cast<unsigned char>(code) < ' ' || code == 0x7F; });
    return line;
}

}  // namespace

std::string serialAdapterName(const std::string &path, const std::string &classFolder) {
    std::error_code ignored;
    const fs::path node = fs::weakly_canonical(path, ignored).filename();
    fs::path folder = fs::weakly_canonical(classFolder / node, ignored);
    for (int i = 0; i < usbDepth && !fs::exists(folder / "product", ignored); i++) folder = folder.parent_path();
    std::string product = firstLine(folder / "product");
    const std::string maker = firstLine(folder / "manufacturer");
    if (product.empty() || product.starts_with(maker)) return product;
    return (maker + " " + product).substr(0, adapterNameLimit);
}

std::vector<std::string> serialDevices(const std::string &deviceFolder, const std::string &classFolder) {
    std::vector<std::string> devices;
    std::set<std::string> meant;
    std::error_code ignored;
    for (const auto &entry : fs::directory_iterator(deviceFolder + "/serial/by-id", ignored)) {
        devices.push_back(entry.path());
        meant.insert(fs::weakly_canonical(entry.path(), ignored));
    }
    std::ranges::sort(devices);
    for (const std::string &path : usbPorts(deviceFolder))
        if (!meant.contains(fs::weakly_canonical(path, ignored))) devices.push_back(path);
    std::ranges::copy(builtInPorts(deviceFolder, classFolder), std::back_inserter(devices));
    return devices;
}

std::string serialDevicePath(const std::string &name, const std::string &deviceFolder, const std::string &classFolder) {
    const bool isNumber = name.size() == 4 && name[3] >= '1' && name[3] <= '4' &&
                          std::ranges::equal(name.substr(0, 3), std::string("COM"), {}, [](char code) {
                              return static_cast<char>(std::toupper(static_cast<unsigned char>(code)));
                          });
    if (!isNumber) return name;
    std::vector<std::string> ports = builtInPorts(deviceFolder, classFolder);
    std::ranges::copy(usbPorts(deviceFolder), std::back_inserter(ports));
    const auto index = static_cast<std::size_t>(name[3] - '1');
    return index < ports.size() ? ports[index] : name;
}

}  // namespace numalink
