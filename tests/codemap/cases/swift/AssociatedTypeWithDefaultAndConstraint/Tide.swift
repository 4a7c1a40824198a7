protocol Container {
    associatedtype Item: Equatable, Codable = String
    associatedtype Iterator: IteratorProtocol where Iterator.Element == Item
}
