func load() async throws(LoadError) -> Data { Data() }
func map<E>(_ f: () throws(E) -> Void) throws(E) {}
