// numalink-cli: the library without a window.
int main() { return 0; }
