protocol Store<Key, Value>: AnyObject {
    associatedtype Key: Hashable
    associatedtype Value where Value: Codable
}
