func hex<T>(_ value: T,
            prefix shouldPrefix: Bool = true,
            width: Int = MemoryLayout<T>.size * 2)
    -> String {
    return ""
}

struct Counter {
    mutating func edgeCounts(
        consuming s: String,
        package name: String
    ) -> Int {
        0
    }
}
