func run(job: (Int, String) -> Void, then: @escaping @Sendable (Result<Int, Error>) -> Void = { _ in }) {}
