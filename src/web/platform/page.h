// What the player asks of the page around it. The page keeps the stack of whoever sleeps, serves the user meanwhile,
// and lets the sleeper go on when its time is over, or at pageWake.
#pragma once

namespace numalink {

inline constexpr int longestSleep = 1000;  // milliseconds; who sleeps looks at what it waits for at least so often

[[clang::import_module("page"), clang::import_name("sleep")]] void pageSleep(int milliseconds);
[[clang::import_module("page"), clang::import_name("wake")]] void pageWake();
[[clang::import_module("page"), clang::import_name("now")]] double pageNow();  // milliseconds, monotonic

}  // namespace numalink
