// The program without a window.
int main(int, char**) { return 1; }
