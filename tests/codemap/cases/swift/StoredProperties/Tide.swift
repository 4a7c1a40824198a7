struct Tide {
    let height: Double
    var name = "tide", level: Int = 3
    private(set) var time: Date?
    public private(set) var place: Place!
    weak var delegate: Delegate?
    unowned(unsafe) let owner: Owner
    static var shared = Tide()
    lazy var view: View = View()
    nonisolated(unsafe) static var cache: [Int: Int] = [:]
    internal fileprivate(set) var state = 0
}
