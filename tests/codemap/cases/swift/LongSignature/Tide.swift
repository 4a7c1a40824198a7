func veryLong(first: (Int, (String) -> [String: Int]), second: @autoclosure () throws -> Bool = true, third: UnsafeMutablePointer<Int>? = nil) rethrows -> (a: Int, b: [Int]) where Int: Hashable {}
