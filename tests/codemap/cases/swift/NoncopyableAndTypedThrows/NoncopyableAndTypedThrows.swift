struct Descriptor: ~Copyable, Sendable {
    private let fd: Int32
    consuming func close() throws(IOError) {}
    borrowing func read(into buffer: inout [UInt8]) -> Int { 0 }
    static func == (lhs: borrowing Self, rhs: borrowing Self) -> Bool { true }
    deinit { _ = fd }
}

nonisolated(unsafe) var shared: [String: Any] = [:]

func load<E: Error>(_ body: () throws(E) -> Int) throws(E) -> Int { try body() }

func merge<each T: Hashable, each U>(_ t: repeat each T, u: repeat (each U)) -> (repeat each T)
where repeat each T: Equatable {
    t
}
