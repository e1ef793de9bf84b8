// The window application.
int main(int, char**) { return 1; }
