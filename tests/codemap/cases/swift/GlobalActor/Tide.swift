@globalActor public actor TideActor {
    public static let shared = TideActor()
}
