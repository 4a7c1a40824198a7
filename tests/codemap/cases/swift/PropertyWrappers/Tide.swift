struct TideScreen: View {
    @State private var height = 0.0
    @Binding var isShown: Bool
    @Environment(\.colorScheme) var scheme: ColorScheme
    @FetchRequest(sortDescriptors: [SortDescriptor(\.name)], predicate: nil)
    private var tides: FetchedResults<Tide>
    @Clamped(0...5) var level = 3
    @AppStorage("key") var key: String = ""
    @Wrapper<Int>(wrappedValue: 1) var generic
}
