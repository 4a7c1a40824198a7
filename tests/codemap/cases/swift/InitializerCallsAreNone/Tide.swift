class Tide {
    let view = UIView.init(frame: .zero)
    lazy var other: Tide = .init()
    convenience init() { self.init(height: 1) }
}
