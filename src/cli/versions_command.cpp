// numalink-cli versions: the earlier forms of an item, and bringing one back.
#include <cstdio>
#include <ctime>
#include <memory>
#include <nlohmann/json.hpp>

#include "calculator/charset.h"
#include "cli/commands.h"
#include "cli/library_session.h"
#include "cli/terminal_ui.h"
#include "history/history.h"
#include "store/item_store.h"
#include "text/view_runs.h"

namespace numalink {

namespace {

struct VersionsOptions {
    std::string library, item;
    int show = -1;
    int restore = -1;
    bool json = false;
};

constexpr const char *causeNames[formCauseCount] = {"",         "made",         "edited",     "received", "imported",
                                                    "replaced", "brought back", "taken back", "removed"};

const char *nameOf(FormCause cause) { return causeNames[static_cast<std::size_t>(cause)]; }

std::string timeText(std::uint64_t time) {
    if (time == 0) return "-";
    const auto seconds = static_cast<std::time_t>(time);
    std::tm local{};
    char text[32] = "-";
    if (localtime_r(&seconds, &local) != nullptr) std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &local);
    return text;
}

void listForm(const FormEntry &form, std::size_t number, bool named) {
    std::printf("%6zu  %-19s  %-12s %7zu%s%s\n", number, timeText(form.time).c_str(), nameOf(form.cause), form.size,
                named ? "  " : "", named ? printableName(form.name).c_str() : "");
}

nlohmann::ordered_json asJson(const FormEntry &form, std::size_t number) {
    return {{"number", number},
            {"time", form.time},
            {"cause", nameOf(form.cause)},
            {"kind", form.kind},
            {"name", utf8FromCalculator(form.name)},
            {"size", form.size}};
}

int listForms(const std::vector<FormEntry> &forms, bool json) {
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (std::size_t number = 0; number < forms.size(); number++) {
        if (json)
            list.push_back(asJson(forms[number], number));
        else
            listForm(forms[number], number, false);
    }
    if (json) std::printf("%s\n", list.dump(1).c_str());
    return exitDone;
}

int listGone(bool json) {
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (const GoneItem &item : historyGone()) {
        if (json)
            list.push_back(asJson(item.form, item.id));
        else
            listForm(item.form, item.id, true);
    }
    if (json) std::printf("%s\n", list.dump(1).c_str());
    return exitDone;
}

int showForm(const StoredItem &form) {
    if (!isTextKind(form.kind)) return commandFailed("only programs are shown");
    for (const ViewLine &line : viewLines(form.data)) std::printf("%s\n", utf8FromCalculator(line.text).c_str());
    return exitDone;
}

// An item that has gone comes back as a new one, under a name that is free.
int restoreGone(const std::string &item) {
    StoredItem form;
    const auto id = static_cast<ItemId>(std::strtoul(item.c_str(), nullptr, 10));
    if (!historyReadGone(id, form)) return commandFailed("no item \"" + item + "\", neither there nor gone");
    const ItemId parent = storeStandardFolder(standardFolderOfKind(form.kind));
    const NamedCause cause(FormCause::broughtBack);
    const ItemId came = storeAddItem({.name = form.name,
                                      .parent = parent == noItem ? rootId : parent,
                                      .kind = form.kind,
                                      .head = std::move(form.head),
                                      .data = std::move(form.data),
                                      .whenTaken = NameTaken::nextFreeName});
    return came == noItem ? exitFailed : exitDone;
}

int runVersions(const VersionsOptions &options) {
    const LibrarySession session(options.library);
    if (!session.open) return exitFailed;
    if (options.item.empty()) return listGone(options.json);
    const ItemId id = findItem(options.item);
    if (id == noItem && options.restore >= 0) return restoreGone(options.item);
    if (id == noItem) return commandFailed("no item \"" + options.item + "\" in this library");
    const std::vector<FormEntry> forms = historyForms(id);
    const int asked = std::max(options.show, options.restore);
    if (asked >= static_cast<int>(forms.size()))
        return commandFailed("there is no form " + std::to_string(asked) + " of " + options.item);
    if (options.restore > 0)
        return historyBringBack(id, static_cast<std::size_t>(options.restore)) ? exitDone : exitFailed;
    StoredItem form;
    if (options.show >= 0)
        return historyReadForm(id, static_cast<std::size_t>(options.show), form) ? showForm(form) : exitFailed;
    return listForms(forms, options.json);
}

}  // namespace

CommandRun declareVersions(CLI::App &command) {
    const auto options = std::make_shared<VersionsOptions>();
    command.add_option("LIBRARY-FOLDER", options->library, "Folder of storage.dat")->required();
    command.add_option("ITEM", options->item,
                       "An id, or a path such as /Programs/SNAKE; without it, items that have gone are listed by id");
    command.add_option("--show", options->show, "Print the text of this form; 0 is as it is now")
        ->check(CLI::Range(0, 1000));
    command
        .add_option("--restore", options->restore,
                    "Bring this form back; of an item that has gone, any number brings it back")
        ->check(CLI::Range(0, 1000));
    command.add_flag("--json", options->json, "The list as JSON, with times in seconds since 1970");
    return [options] { return runVersions(*options); };
}

}  // namespace numalink
