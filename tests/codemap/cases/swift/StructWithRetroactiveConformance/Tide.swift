extension Date: @retroactive Identifiable {
    public var id: Date { self }
}
