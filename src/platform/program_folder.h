// The folders that every path of the program starts from. Set once at start-up, before any other thread.
#pragma once

#include <string>

namespace numalink {

// The folder of the data files (casio.ptt, *.cft, Language), with a final "/". Starts as the folder of the
// executable file.
const std::string &programFolder();
void setProgramFolder(const std::string &folder);

// The folder of storage.dat and settings.xml, with a final "/". The program folder unless set: only
// numalink-cli and tests set it.
const std::string &libraryFolder();
void setLibraryFolder(const std::string &folder);

}  // namespace numalink
