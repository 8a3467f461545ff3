// The pictures of the README and of docs/, but for those of other displays: taken by numalink-tour, kept in
// docs/images.
#pragma once

#include <QString>

// With no dialog open; in a library of its own that holds the samples. German and dark windows start the program anew,
// so that this comes last; the program is left started. False when one couldn't be taken.
bool takeDocPictures(const QString &folder);
