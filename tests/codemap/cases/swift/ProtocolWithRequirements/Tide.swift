protocol Tide {
    associatedtype Level: Comparable
    associatedtype Clock = Date
    var height: Level { get }
    var name: String { get set }
    static var all: [Self] { get }
    init(height: Level)
    init?(name: String)
    func rise()
    func rise(by amount: Level) -> Level
    mutating func fall() throws
    static func make() async throws -> Self
    subscript(hour: Int) -> Level { get }
}
