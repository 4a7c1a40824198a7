struct Handle: ~Copyable {
    deinit { close() }
}
