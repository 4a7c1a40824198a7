protocol TideDelegate: class {
    func tideChanged()
}
