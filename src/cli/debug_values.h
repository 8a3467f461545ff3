// The requests of the debug adapter that look into a stopped run and change it. The reader's thread.
#pragma once

#include <string>

#include "cli/debug_messages.h"

namespace numalink {

void answerScopes(const DebugRequest &request);
void answerVariables(const DebugRequest &request);
void answerSetVariable(const DebugRequest &request);
void answerEvaluate(const DebugRequest &request);

// The name that a variable of a scope or of an array, as a request names it, has by itself.
std::string debugTargetNameOf(const DebugRequest &request);

}  // namespace numalink
