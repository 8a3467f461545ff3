#include "emulator/machine/graph_memory.h"

namespace numalink {

GraphSettings graphs;

GraphFunction *graphFunction(double number) {
    const int index = cutToInteger(number) - 1;
    return index >= 0 && index < graphFunctionCount ? &graphs.functions[static_cast<std::size_t>(index)] : nullptr;
}

FunctionName functionNameOf(const ProgramCell &cell) {
    const bool isName = cell.kind == CellKind::token && cell.token1 == firstFunctionName.first &&
                        cell.token2 >= firstFunctionName.second && cell.token2 <= lastFunctionName.second;
    return isName ? static_cast<FunctionName>(cell.token2 - firstFunctionName.second) : FunctionName::none;
}

bool namesType(FunctionName name, GraphType type) {
    switch (name) {
        case FunctionName::y:
            return type == GraphType::equal || isInequality(type);
        case FunctionName::r:
            return type == GraphType::polar;
        case FunctionName::xt:
        case FunctionName::yt:
            return type == GraphType::parametric;
        case FunctionName::x:
            return type == GraphType::upright;
        default:
            return false;
    }
}

}  // namespace numalink
