class Cache<Key, Value>: Store where Key: Hashable, Value == Tide {
    let store = [Key: Value]()
}
