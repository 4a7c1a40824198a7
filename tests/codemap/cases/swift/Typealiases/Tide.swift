typealias Height = Double
public typealias Handler<T> = (Result<T, Error>) -> Void
class Tide {
    typealias Level = [String: (Int) -> Void]
    private typealias Key =
        String
    typealias Callback = @convention(c) (Int) -> Void
}
