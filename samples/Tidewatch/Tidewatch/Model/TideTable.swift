import Foundation

class TideTable {
    var station: Station
    private var tides: [Tide] = []

    init(station: Station) {
        self.station = station
    }

    // MARK: - Reading

    // navrel: Next tide
    func next(after date: Date) -> Tide? {
        return tides.first { $0.time > date }
    }

    // MARK: - Loading

    // WARNING: - the server's answer is taken as it is
    func load(_ answer: [Tide]) {
        tides = answer.sorted { $0.time < $1.time }
    }
}
