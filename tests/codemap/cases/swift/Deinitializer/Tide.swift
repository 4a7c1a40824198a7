final class Tide {
    deinit {
        observers.forEach { $0() }
    }
    var after: Int
}
