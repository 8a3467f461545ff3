#include "exchange/export/export_formats.h"

#include <algorithm>

namespace numalink {

namespace {

constexpr ExportFormat formats[] = {
    {ExportTarget::cas, "cas", "cas", ".cas", Text::exportTypeCas, Text::filterCas},
    {ExportTarget::cat, "cat", "cat", ".cat", Text::exportTypeCat, Text::filterCat},
    {ExportTarget::catAlgebra, "cat (algebra)", "cat-algebra", ".cat", Text::exportTypeCatAlgebra, Text::filterCat},
};

}  // namespace

std::span<const ExportFormat> exportFormats() { return formats; }

const ExportFormat *exportFormatOf(ExportTarget target) {
    const auto *const format = std::ranges::find(formats, target, &ExportFormat::target);
    return format == std::end(formats) ? nullptr : format;
}

}  // namespace numalink
