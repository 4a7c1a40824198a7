enum Constants {
    static let one = 1, two = 2
    static let names = [
        "a",
        "b",
    ]
    enum Keys { static let id = "id" }
}
