enum Message {
    case text(String)
    case move(from: Point, to: Point = .zero), stop
    case callback((Int, String) -> Void)
}
