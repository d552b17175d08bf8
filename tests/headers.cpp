// The headers that CMake precompiles for the tests are attached to a program; it has nothing else.
int main() {}
