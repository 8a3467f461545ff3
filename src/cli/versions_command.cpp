// numalink-cli versions: the earlier forms of an item, and bringing one back.
#include <charconv>
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
int restoreGone(StoredItem form) {
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

int runForGone(const VersionsOptions &options) {
    ItemId id = noItem;
    const char *end = options.item.data() + options.item.size();
    const bool isId = std::from_chars(options.item.data(), end, id).ptr == end;
    StoredItem form;
    if (!isId || !historyReadGone(id, form))
        return commandFailed("no item \"" + options.item + "\" in this library, and none that has gone from it");
    if (options.show >= 0) return showForm(form);
    if (options.restore > 0) return restoreGone(std::move(form));
    return commandFailed("item " + options.item + " has gone; --show prints its last form, --restore brings it back");
}

int runVersions(const VersionsOptions &options) {
    const LibrarySession session(options.library);
    if (!session.open) return exitFailed;
    if (options.show >= 0 && !session.tokens)
        return commandFailed("casio.ptt beside the program can't be read, so no text is shown");
    if (options.item.empty()) return listGone(options.json);
    const ItemId id = findItem(options.item);
    if (id == noItem) return runForGone(options);
    const std::vector<FormEntry> forms = historyForms(id);
    const int asked = std::max(options.show, options.restore);
    if (asked >= static_cast<int>(forms.size()))
        return commandFailed("there is no form " + std::to_string(asked) + " of " + options.item);
    if (options.restore > 0)
        return historyBringBack(id, static_cast<std::size_t>(options.restore)) ? exitDone : exitFailed;
    if (options.show < 0) return listForms(forms, options.json);
    StoredItem form;
    if (!historyReadForm(id, static_cast<std::size_t>(options.show), form))
        return commandFailed("form " + std::to_string(asked) + " of " + options.item + " can't be read whole");
    return showForm(form);
}

}  // namespace

CommandRun declareVersions(CLI::App &command) {
    const auto options = std::make_shared<VersionsOptions>();
    command.add_option("LIBRARY-FOLDER", options->library, "Folder of storage.dat")->required();
    auto *item = command.add_option("ITEM", options->item,
                                    "An id, or a path such as /Programs/SNAKE; without it, items that have gone are "
                                    "listed by id");
    auto *show = command.add_option("--show", options->show,
                                    "Print the text of this form; 0 is as it is now. Of an item that has gone, any "
                                    "number prints its last one");
    show->check(CLI::Range(0, 1000))->needs(item);
    command
        .add_option("--restore", options->restore,
                    "Bring this form back; of an item that has gone, any number brings it back")
        ->check(CLI::Range(1, 1000))
        ->needs(item)
        ->excludes(show);
    command.add_flag("--json", options->json, "The list as JSON, with times in seconds since 1970")->excludes(show);
    return [options] { return runVersions(*options); };
}

}  // namespace numalink
