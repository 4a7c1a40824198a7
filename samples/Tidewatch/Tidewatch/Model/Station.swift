import Foundation

/// A place where the water is measured.
struct Station {
    let name: String
    let latitude: Double
    let longitude: Double

    // MARK: - Distance

    func distance(to other: Station) -> Double {
        let dx = latitude - other.latitude
        let dy = longitude - other.longitude
        return (dx * dx + dy * dy).squareRoot()
    }
}
