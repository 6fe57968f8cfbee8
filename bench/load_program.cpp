// Does nothing, with the libraries that it is linked with loaded.
int main() {}
