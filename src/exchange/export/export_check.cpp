// An item is written only where a reader gets it back: what was just written is read and held against the item.
#include <algorithm>
#include <cmath>

#include "calculator/frames.h"
#include "calculator/number_text.h"
#include "exchange/export/export_writers.h"
#include "exchange/import/import.h"
#include "exchange/import/import_readers.h"

namespace numalink {

namespace {

// A name's field as calculators pad it.
void padName(Bytes &head) {
    const auto field = head.begin() + frameNameOffset;
    const auto isPad = [](std::uint8_t byte) { return byte == 0 || byte == 0xFF; };
    const auto end = std::find_if(field, field + frameNameSize, isPad);
    if (std::all_of(end, field + frameNameSize, isPad)) std::fill(end, field + frameNameSize, std::uint8_t{0xFF});
}

bool sameHeads(Bytes a, Bytes b, bool asText) {
    for (Bytes *head : {&a, &b}) {
        padName(*head);
        // The group is what no text record has, and no calculator asks for.
        if (asText) std::fill_n(head->begin() + frameGroupOffset, frameNameSize, std::uint8_t{0});
        frameChecksum(*head);
    }
    return a == b;
}

bool samePrograms(const OutgoingItem &item, const ImportedItem &back, ExportTarget target) {
    const auto before = decodeProgramInfo(item.head);
    const auto after = decodeProgramInfo(back.head);
    if (!before || !after || before->name != after->name) return false;
    if (!std::ranges::equal(before->option, after->option)) return false;
    // The text record of the ALGEBRA family has its password where readers skip it.
    if (target != ExportTarget::catAlgebra && before->password != after->password) return false;
    Bytes image = imageWithChecksumPlace(item.data);
    sumData(item.itemKind, item.head, image);
    Bytes read = back.data;
    sumData(item.itemKind, back.head, read);
    return image == read;
}

using ValueView = std::span<const std::uint8_t, valueFrameSize>;

bool sameValues(ValueView a, ValueView b) {
    constexpr std::size_t placeBytes = 5;
    constexpr double textPrecision = 1e-13;
    if (!std::ranges::equal(a.first<placeBytes>(), b.first<placeBytes>())) return false;
    const double before = decodeValue(a);
    return std::abs(before - decodeValue(b)) <= std::abs(before) * textPrecision;
}

bool sameData(const OutgoingItem &item, const ImportedItem &back, bool asText) {
    if (item.data.size() != back.data.size()) return false;
    if (asText && item.itemKind != kind::picture) {
        for (std::size_t at = 0; at + valueFrameSize <= item.data.size(); at += valueFrameSize) {
            if (!sameValues(ByteView(item.data).subspan(at).first<valueFrameSize>(),
                            ByteView(back.data).subspan(at).first<valueFrameSize>()))
                return false;
        }
        return true;
    }
    Bytes before = item.data;
    Bytes after = back.data;
    sumData(item.itemKind, item.head, before);
    sumData(item.itemKind, item.head, after);
    return before == after;
}

bool sameItem(const OutgoingItem &item, const ImportedItem &back, ExportTarget target) {
    if (item.itemKind != back.itemKind) return false;
    if (isTextKind(item.itemKind)) return samePrograms(item, back, target);
    const bool asText = target != ExportTarget::cas;
    return item.head.size() == back.head.size() && sameHeads(item.head, back.head, asText) &&
           sameData(item, back, asText);
}

bool readsBack(const OutgoingItem &item, ExportTarget target, ByteView record) {
    ImportReport report;
    std::size_t same = 0;
    const ItemSink sink = [&](const ImportedItem &back) {
        if (sameItem(item, back, target)) same++;
        return true;
    };
    if (target == ExportTarget::cas) {
        Bytes file(record.begin(), record.end());
        appendFileEnd(target, file);
        readCas(file, sink, report);
    } else {
        readCat(record, sink, report);
    }
    return report.items == 1 && same == 1 && report.messages.empty();
}

}  // namespace

std::optional<ExportRefusal> appendItem(const OutgoingItem &item, ExportTarget target, Bytes &file) {
    const std::size_t start = file.size();
    const auto refusal =
        target == ExportTarget::cas ? writeCas(item, file) : writeCat(item, target == ExportTarget::catAlgebra, file);
    if (refusal) return refusal;
    const bool tooLarge = item.data.size() > itemDataLimit;
    if (!tooLarge && readsBack(item, target, ByteView(file).subspan(start))) return std::nullopt;
    file.resize(start);
    return ExportRefusal{tooLarge ? ExportFault::tooLarge : ExportFault::notWhole};
}

void appendFileEnd(ExportTarget target, Bytes &file) {
    if (target != ExportTarget::cas) return;
    const Bytes closing = buildHeadFrame(kind::endOfTransmission, Family::cfx, {}).value_or(Bytes{});
    file.insert(file.end(), closing.begin(), closing.end());
}

}  // namespace numalink
