// numalink-cli link: the link's thread on a library, without a window. What the window would show is printed as it
// comes; standard input takes commands, one a line.
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <sstream>

#include "calculator/charset.h"
#include "cli/commands.h"
#include "cli/library_session.h"
#include "cli/terminal_ui.h"
#include "link/attention.h"
#include "link/link_thread.h"
#include "link/transmit_queue.h"
#include "link/wire_trace.h"
#include "platform/clock.h"
#include "platform/lock.h"
#include "settings/settings_store.h"
#include "store/item_store.h"
#include "store/undo/undo.h"
#include "telling/tell_user.h"
#include "telling/texts.h"
#include "telling/user_interface.h"

namespace numalink {

namespace {

constexpr std::uint64_t timerMilliseconds = 500;
constexpr int existsQuestion = 40;  // text number
constexpr int slotQuestion = 110;   // dialog number: its wording has no text number

struct LinkOptions {
    std::string library;
    std::string port;
    std::string type = "cfx";
    std::string answer = "cancel";
    int slot = 0;
    bool removeColor = false;
    int seconds = 0;
    bool json = false;
    std::string trace;  // file, or empty
};

// What the link's thread reads while commands may change it.
std::atomic<Answer> chosenAnswer = Answer::cancel;
std::atomic<int> chosenSlot = 0;
std::atomic<bool> asJson = false;
std::atomic<bool> boxShown = false;
std::atomic<int> progressMaximum = 0;
std::atomic<std::size_t> queueShown = 0;
Lock printLock;  // one line at a time on standard output

struct AnswerRow {
    const char *word;
    Answer answer;
};
constexpr AnswerRow answerRows[] = {{"yes", Answer::yes}, {"no", Answer::no}, {"cancel", Answer::cancel}};

std::string wordOf(Answer answer) {
    for (const AnswerRow &row : answerRows)
        if (row.answer == answer) return row.word;
    return "ok";
}

bool chooseAnswer(const std::string &word) {
    for (const AnswerRow &row : answerRows) {
        if (word != row.word) continue;
        chosenAnswer = row.answer;
        return true;
    }
    return false;
}

void print(const nlohmann::ordered_json &object, const std::string &line) {
    const std::string text =
        asJson ? object.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) : onOneLine(line);
    const HoldLock hold(printLock);
    std::printf("%s\n", text.c_str());
    std::fflush(stdout);
}

Answer showBox(const Box &box) {
    if (box.hasCancel()) {
        const Answer answer = chosenAnswer;
        print({{"question", textNumber(box.bodyText)}, {"answer", wordOf(answer)}, {"text", box.body}},
              "question " + std::to_string(textNumber(box.bodyText)) + ": " + box.body + " " + wordOf(answer));
        return answer == Answer::yes ? Answer::ok : Answer::cancel;
    }
    boxShown = true;
    nlohmann::ordered_json numbers = {textNumber(box.bodyText), textNumber(box.titleText)};
    for (const std::string &argument : box.arguments) numbers.push_back(argument);
    print({{"box", numbers}, {"text", box.body}}, "box " + std::to_string(textNumber(box.bodyText)) + " " +
                                                      std::to_string(textNumber(box.titleText)) + ": " + box.body);
    return Answer::ok;
}

Answer answerExists(const std::string &question) {
    const Answer answer = chosenAnswer;
    print({{"question", existsQuestion}, {"answer", wordOf(answer)}, {"text", question}},
          "question " + std::to_string(existsQuestion) + ": " + question + " " + wordOf(answer));
    return answer;
}

int answerSlot(const std::string &name, int preset) {
    const int slot = chosenSlot != 0 ? chosenSlot.load() : preset;
    print({{"question", slotQuestion}, {"answer", slot}, {"text", name}},
          "question " + std::to_string(slotQuestion) + ": " + name + " " + std::to_string(slot));
    return slot;
}

void installLinkUi() {
    userInterface.messageBox = showBox;
    userInterface.askItemExists = answerExists;
    userInterface.askPictureSlot = answerSlot;
    userInterface.statusText = [](StatusPart part, Text told, const std::string &text) {
        const int number = textNumber(told);
        if (part != StatusPart::link || (number == 0 && text.empty())) return;
        print({{"status", number}, {"text", text}}, "status " + std::to_string(number) + ": " + text);
    };
    userInterface.progressRange = [](int maximum) { progressMaximum = maximum; };
    userInterface.progressPosition = [](int position) {
        if (position == 0) return;
        const int maximum = progressMaximum;
        print({{"progress", position}, {"of", maximum}},
              "progress " + std::to_string(position) + " of " + std::to_string(maximum));
    };
    userInterface.itemReceived = [](std::uint32_t id) {
        print(nlohmann::ordered_json::object({{"stored", id}}), "stored " + std::to_string(id));
    };
    userInterface.transmitQueueChanged = [] {
        const std::size_t count = transmitQueueCount();
        if (queueShown.exchange(count) != count)
            print(nlohmann::ordered_json::object({{"queue", count}}), "queue " + std::to_string(count));
    };
}

// What the commands ask for: exitFailed once one of them could not be done.
int commandStatus = exitDone;

void queueNamed(const std::string &item, bool begin) {
    const ItemId id = findItem(item);
    if (id == noItem) {
        commandStatus = commandFailed("no item " + item);
    } else if (begin) {
        queueAndBegin(id);
    } else {
        queueAndTell(id);
    }
}

// The newest of what calculators have replaced, as Undo in the window.
void takeBack() {
    TakenBack done;
    const bool isThere = storeUndoOffer().has_value();
    if (!isThere || !storeUndo(done)) {
        if (!isThere) commandStatus = commandFailed(wording(Text::nothingToUndo));
        if (done.changedSince) commandStatus = commandFailed(wording(Text::changedSince));
        return;
    }
    const std::string name = utf8FromCalculator(done.step.name);
    print({{"undone", name}, {"count", done.step.count}},
          "undone " + name + ", items: " + std::to_string(done.step.count));
}

// False to end.
bool runLine(const std::string &line) {
    const std::size_t gap = line.find(' ');
    const std::string word = line.substr(0, gap);
    const std::string rest = gap == std::string::npos ? "" : line.substr(gap + 1);
    if (word == "quit") return false;
    if (word == "transmit" || word == "queue") {
        queueNamed(rest, word == "transmit");
    } else if (word == "go") {
        if (!attentionIsOut() && !beginTransmit()) commandStatus = commandFailed("nothing to transmit");
    } else if (word == "undo") {
        takeBack();
    } else if (word == "slot" && rest.size() == 1 && rest[0] >= '1' && rest[0] <= '6') {
        chosenSlot = rest[0] - '0';
    } else if (!word.empty() && (word != "answer" || !chooseAnswer(rest))) {
        commandStatus = commandFailed("no such command: " + line);
    }
    return true;
}

enum class InputEnd { none, quit, end };

// Takes what standard input has within the time, and runs whole lines.
InputEnd takeInput(std::string &buffer, int milliseconds) {
    pollfd entry{STDIN_FILENO, POLLIN, 0};
    if (poll(&entry, 1, milliseconds) <= 0) return InputEnd::none;
    char part[4096];
    const ssize_t count = read(STDIN_FILENO, part, sizeof part);
    if (count > 0) buffer.append(part, static_cast<std::size_t>(count));
    if (count <= 0 && !buffer.empty()) buffer += '\n';
    for (std::size_t end = buffer.find('\n'); end != std::string::npos; end = buffer.find('\n')) {
        std::string line = buffer.substr(0, end);
        buffer.erase(0, end + 1);
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (!runLine(line)) return InputEnd::quit;
    }
    return count > 0 ? InputEnd::none : InputEnd::end;
}

bool linkIsBusy() { return linkPort() == LinkPort::untried || linkConversationRuns() || attentionIsOut(); }

// Until quit, the end of input with nothing under way, or the time. Whether the port opens is awaited in any case.
void serveInput(int seconds) {
    const std::uint64_t start = tickCount();
    std::uint64_t nextTimer = start + timerMilliseconds;
    std::string buffer;
    bool inputEnded = false, hasQuit = false;
    for (;;) {
        const std::uint64_t now = tickCount();
        if (seconds > 0 && now - start >= static_cast<std::uint64_t>(seconds) * 1000) return;
        if (now >= nextTimer) {
            transmitDeadlineTest();
            nextTimer = now + timerMilliseconds;
        }
        if (hasQuit ? linkPort() != LinkPort::untried : inputEnded && !linkIsBusy()) return;
        const int wait = static_cast<int>(nextTimer > now ? nextTimer - now : 0);
        if (inputEnded || hasQuit) {
            sleepMilliseconds(static_cast<std::uint64_t>(std::min(wait, 20)));
            continue;
        }
        const InputEnd end = takeInput(buffer, wait);
        hasQuit = end == InputEnd::quit;
        inputEnded = end == InputEnd::end;
    }
}

// Not done: a command, the opening of the port, or what was queued and hasn't gone.
int endStatus() {
    if (linkPort() == LinkPort::refused || transmitQueueCount() + transmitDroppedCount() > 0) return exitFailed;
    return std::max(commandStatus, boxShown ? exitShown : exitDone);
}

int runLink(const LinkOptions &options) {
    asJson = options.json;
    boxShown = false;
    commandStatus = exitDone;
    if (!chooseAnswer(options.answer)) return commandFailed("no such answer: " + options.answer);
    chosenSlot = options.slot;
    const LibrarySession session(options.library, WhenAbsent::make);
    if (!session.open) return exitFailed;
    if (!settingsSetValue(setting::comPort, options.port)) return commandFailed("no such port: " + options.port);
    settingsSetValue(setting::linkType, options.type);
    if (options.removeColor) settingsSetInt(setting::removeColor, 1);
    installLinkUi();
    if (!options.trace.empty()) {
        const Text cause = wireTraceStart(options.trace);
        if (cause != Text::none) return commandFailed(wording(cause, {options.trace}));
    }
    startLinkThread();
    serveInput(options.seconds);
    stopLinkThread();
    if (!wireTraceEnd()) return commandFailed("the trace could not be written to its end: " + options.trace);
    return endStatus();
}

}  // namespace

CommandRun declareLink(CLI::App &command) {
    const auto options = std::make_shared<LinkOptions>();
    command.add_option("LIBRARY-FOLDER", options->library, "Folder of storage.dat, made when absent")->required();
    command.add_option("--port", options->port, "Serial device, COM1 to COM4, or automatic")->required();
    command.add_option("--type", options->type, "Type of the calculator")
        ->required()
        ->check(CLI::IsMember({"cfx", "algebra"}, CLI::ignore_case));
    command.add_option("--answer", options->answer, "To all questions: yes, no or cancel")
        ->check(CLI::IsMember({"yes", "no", "cancel"}));
    command.add_option("--slot", options->slot, "Place of pictures in the calculator")->check(CLI::Range(1, 6));
    command.add_flag("--remove-colour", options->removeColor, "Send programs without colour commands");
    command.add_option("--seconds", options->seconds, "End after so many")->check(CLI::NonNegativeNumber);
    command.add_option("--trace", options->trace, "Write what goes over the line to this file, decoded");
    command.add_flag("--json", options->json, "One JSON object a line");
    command.footer(
        "Commands on standard input: transmit ITEM, queue ITEM, go, undo, answer yes|no|cancel, slot N, quit");
    return [options] { return runLink(*options); };
}

}  // namespace numalink
