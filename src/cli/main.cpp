// numalink-cli: the library without a window.
#include "cli/commands.h"

int main(int argc, char **argv) { return numalink::runCommandLine(argc, argv); }
