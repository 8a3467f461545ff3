// Everything that code below the shell may ask of the user interface.
// The shell fills the table once at start-up, numalink-cli fills it with terminal output, a test with a recorder.
// Every entry may be called on any thread and returns when it is done or answered.
// No caller holds a lock across such a call: the graphical thread may need that lock to answer.
// All wording is UTF-8.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/surface.h"
#include "telling/texts.h"

namespace numalink {

enum class BoxIcon { none, information, warning, error };
// okGoTo: beside OK a way to the place that the box speaks of, which the front end takes by itself. cancelOk: as
// okCancel, but Return cancels: for what comes up amid other keys, and loses something.
enum class BoxButtons { ok, okCancel, okGoTo, cancelOk };
enum class Answer { cancel, ok, yes, no };

// A message box. Text::none stands for a wording that is fixed in the program.
struct Box {
    Text bodyText = Text::none;
    Text titleText = Text::none;
    std::string body;
    std::string title;
    BoxIcon icon = BoxIcon::warning;
    BoxButtons buttons = BoxButtons::ok;
    std::vector<std::string> arguments;  // what stands in the places of %d and %s

    bool hasCancel() const { return buttons == BoxButtons::okCancel || buttons == BoxButtons::cancelOk; }
};

enum class ImportAction { none = 0, oneFolder = 1, standardFolders = 2, transmit = 4 };

// The question where imported items go, with the answer in the same record.
struct ImportQuestion {
    std::vector<std::string> itemNames;                   // UTF-8
    std::string folderName;                               // UTF-8, edited by the user
    ImportAction action = ImportAction::standardFolders;  // preset, then the choice; none when cancelled
    std::size_t filesLeft = 0;                            // files that come behind this one
    bool forAll = false;                                  // the answer, a cancelling too, holds for those
};

// What comes in, held against what stands where it goes. twice: another of its kind and name comes in ahead of it.
enum class ArrivalState { isNew, same, differs, twice };
// take is of new ones alone, and replace of those that are the same or differ.
enum class ArrivalChoice { take, replace, keepBoth, skip };

struct ArrivalRow {
    std::uint32_t id = 0;     // of the item that waits
    std::uint32_t there = 0;  // of the item whose place it would take; of one that comes twice the first; else 0
    std::uint32_t kind = 0;
    std::string name;      // UTF-8
    std::string where;     // UTF-8, the folder that it goes to
    std::string freeName;  // UTF-8, what keepBoth calls it
    ArrivalState state = ArrivalState::isNew;
    ArrivalChoice choice = ArrivalChoice::take;  // preset, then the user's
};

// The question what becomes of all that comes in. Not accepted, nothing comes in.
struct ArrivalsQuestion {
    std::vector<ArrivalRow> rows;
    std::vector<std::string> notes;  // UTF-8, what reading the files had to tell
    bool moves = false;              // the items are the library's own
    bool accepted = false;
};

// The question of an export: which items go into which sort of file, and where.
enum class ExportTarget { none = 0, cat = 1, cas = 2, catAlgebra = 4 };

struct ExportCandidate {
    std::uint32_t id = 0;
    std::string folder;  // UTF-8; "Games/Old", "" at the top level
    std::string name;    // UTF-8
};

struct ExportQuestion {
    std::vector<ExportCandidate> items;        // all that can be chosen, by folder and name
    std::vector<std::uint32_t> chosen;         // preset, then the choice in its order; kept by a cancelled file name
    ExportTarget target = ExportTarget::none;  // preset, then the choice
    bool eachAlone = false;                    // a file of its own for each, and path is the folder of them
    std::string path;                          // the chosen file, in the file system's encoding; empty: cancelled
};

// The question of a bitmap: which raster makes the better calculator picture. All surfaces are 128 by 64.
enum class RasterType { sharp = 0, image = 1 };

struct BitmapQuestion {
    std::string fileName;  // UTF-8
    Surface scaled;
    Surface sharp;
    Surface image;
    RasterType type = RasterType::image;  // preset, then the choice
    bool accepted = false;
};

// The three fields of the status bar.
enum class StatusPart { progress = 0, link = 1, item = 2 };

struct UserInterface {
    Answer (*messageBox)(const Box &box);
    void (*statusText)(StatusPart part, Text text, const std::string &worded);  // none: fixed or empty
    void (*progressRange)(int maximum);                                         // 0 empties the bar
    void (*progressPosition)(int position);
    void (*waitCursor)(bool on);
    void (*refreshTree)();
    bool (*leaveCurrentView)();  // false when an edited program can't be stored: the caller gives up
    void (*askImport)(ImportQuestion &question);
    void (*askArrivals)(ArrivalsQuestion &question);
    void (*askExport)(ExportQuestion &question);
    void (*askBitmap)(BitmapQuestion &question);
    Answer (*askItemExists)(const std::string &question);  // yes, no or cancel
    // The slot for the picture of this name, with one of 1 to 6 preset; 0 when closed.
    int (*askPictureSlot)(const std::string &pictureName, int preset);
    void (*itemReceived)(std::uint32_t id);  // an item has come from a calculator and is in the library
    void (*transmitQueueChanged)();          // leaves a mark and returns at once: what can be sent has changed
    void (*displayChanged)();                // leaves a mark and returns at once
};

extern const UserInterface userInterfaceSilent;  // every entry set: does nothing, answers "cancel"
extern UserInterface userInterface;              // silent until a front end has come up

}  // namespace numalink
