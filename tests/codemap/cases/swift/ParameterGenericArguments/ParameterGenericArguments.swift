func sort(by path: KeyPath<Element, some Comparable>) {}
func sign(with options: Result<Key, any Error>, at date: Date) {}
func merge<each T>(_ pack: Pair<Int, repeat each T>, last: Int) {}
func run(_ work: Box<Int, @Sendable () -> Void>, then next: Int) {}
func pick(from range: Range<Int> = Box<Int, any Error>.range, count: Int) {}
func name(any value: Int, some other: Int, each: Int) {}
init(@Builder builder: () throws -> Result<Name, any Error>) rethrows {}
