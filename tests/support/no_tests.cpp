// The program that the precompiled headers of all test programs belong to.
int main() { return 0; }
