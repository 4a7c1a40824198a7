protocol Loader {
    func load(
        from url: URL,
        into cache: Cache
    ) async throws
        -> Data

    func cancel() throws
    var isLoading: Bool
        { get }
    func after()
}
