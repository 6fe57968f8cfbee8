[[gnu::visibility("default")]] void nothing() {}
