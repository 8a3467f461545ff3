#include "settings/settings_file.h"

#include <algorithm>

namespace numalink {

namespace {

// What is between two tags: line ends go, and blanks at either end. Blanks inside stay.
std::string trimmed(std::string_view content) {
    std::string text;
    std::ranges::remove_copy_if(content, std::back_inserter(text), [](char c) { return c == '\r' || c == '\n'; });
    const std::size_t first = text.find_first_not_of(" \t");
    if (first == std::string::npos) return {};
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

// The place behind the end of what begins at a "<", or the text's length when it has no end.
std::size_t behindTag(std::string_view text, std::size_t start) {
    const std::string_view end = text.substr(start).starts_with("<!--") ? "-->" : ">";
    const std::size_t found = text.find(end, start + (end == ">" ? 1 : 4));
    return found == std::string_view::npos ? text.size() : found + end.size();
}

// Where the reader stands: the dotted path of the open elements, and how long it was before each was opened.
struct OpenElements {
    std::string path;
    std::vector<std::size_t> lengths;

    void open(std::string_view name) {
        lengths.push_back(path.size());
        if (!path.empty()) path += '.';
        path += name;
    }
    void close() {
        if (lengths.empty()) return;
        path.resize(lengths.back());
        lengths.pop_back();
    }
};

std::vector<std::string_view> componentsOf(std::string_view key) {
    std::vector<std::string_view> components;
    for (;;) {
        const std::size_t dot = key.find('.');
        components.push_back(key.substr(0, dot));
        if (dot == std::string_view::npos) return components;
        key.remove_prefix(dot + 1);
    }
}

void newLine(std::string &file, std::size_t depth) { file.append("\r\n").append(depth, ' '); }

// Closes the levels from depth on. The tag that follows a value stays on its line.
void closeLevels(std::string &file, std::vector<std::string_view> &open, std::size_t depth) {
    bool valueJustWritten = true;
    while (open.size() > depth) {
        if (!valueJustWritten) newLine(file, open.size() - 1);
        file.append("</").append(open.back()).append(">");
        open.pop_back();
        valueJustWritten = false;
    }
}

}  // namespace

bool settingsParse(std::string_view text, bool (*take)(std::string_view key, std::string_view value)) {
    OpenElements elements;
    std::string content;
    bool allTaken = true;
    for (std::size_t at = 0; at < text.size();) {
        if (text[at] != '<') {
            const std::size_t end = std::min(text.find('<', at), text.size());
            content += text.substr(at, end - at);
            at = end;
            continue;
        }
        const std::size_t end = behindTag(text, at);
        std::string_view tag = text.substr(at + 1, end - at - 1);
        at = end;
        if (tag.ends_with('>')) tag.remove_suffix(1);
        if (tag.starts_with('?') || tag.starts_with('!')) continue;
        if (tag.starts_with('/')) {
            const std::string value = trimmed(content);
            if (!value.empty() && !take(elements.path, value)) allTaken = false;
            elements.close();
        } else if (!tag.ends_with('/')) {
            elements.open(tag);
        }
        content.clear();
    }
    return allTaken;
}

std::string settingsFormat(const std::vector<Setting> &settings) {
    std::string file = "<?xml version=\"1.0\"?>\r\n";
    std::vector<std::string_view> open;
    for (const Setting &setting : settings) {
        const std::vector<std::string_view> components = componentsOf(setting.key);
        // A value's own element holds nothing else, so neither the last one's nor this one's stays open.
        const std::size_t shareable = std::min(open.empty() ? 0 : open.size() - 1, components.size() - 1);
        std::size_t shared = 0;
        while (shared < shareable && open[shared] == components[shared]) shared++;
        closeLevels(file, open, shared);
        for (std::size_t depth = shared; depth < components.size(); depth++) {
            newLine(file, depth);
            file.append("<").append(components[depth]).append(">");
            open.push_back(components[depth]);
        }
        file += setting.value;
    }
    closeLevels(file, open, 0);
    return file;
}

}  // namespace numalink
