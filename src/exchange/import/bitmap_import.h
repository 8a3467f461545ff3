// A bitmap becomes a calculator picture: 128 by 64 dots in three colours on the pale screen. The dots and the item are
// pure; the import itself runs on the graphical thread.
#pragma once

#include <string>

#include "exchange/import/import_readers.h"
#include "platform/surface.h"
#include "telling/user_interface.h"

namespace numalink {

inline constexpr int calculatorPictureWidth = 128;
inline constexpr int calculatorPictureHeight = 64;

// Each dot gets one of the screen's four colours. With RasterType::sharp the nearest; with RasterType::image what has
// been amiss so far counts too, and is forgotten at random places, the same ones each time.
Surface rasterPicture(const Surface &scaled, RasterType type);

// The picture item of a raster: three planes for orange, blue and green, and an empty fourth.
ImportedItem pictureItem(const Surface &raster, const std::string &name);

// Decodes, asks for the raster type and adds the item to the temporary folder. noItem when nothing was added: refused
// by the user, or unreadable (told).
ItemId importBitmap(ByteView file, const std::string &path, const std::string &baseName);

}  // namespace numalink
