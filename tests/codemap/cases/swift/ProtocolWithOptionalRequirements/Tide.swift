@objc protocol Source {
    @objc optional func count() -> Int
    @objc optional var title: String { get }
}
