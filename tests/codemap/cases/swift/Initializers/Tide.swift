class Tide {
    init() {}
    init(height: Int) {}
    init?(name: String) { return nil }
    init!(_ value: Any) {}
    convenience init<T: P>(from thing: T) where T: Q { self.init() }
    required init(coder: NSCoder) { fatalError("init(coder:) is missing") }
    override public init(frame: CGRect) async throws {}
    deinit {}
}
