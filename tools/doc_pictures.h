// The pictures of the README and of docs/, but for those of other displays: taken by numalink-tour, kept in
// docs/images.
#pragma once

#include <QString>

// Over a library that holds the samples, with no dialog open. German and dark windows start the program anew, so that
// this comes last; the program is left started. False when one couldn't be taken.
bool takeDocPictures(const QString &folder);
