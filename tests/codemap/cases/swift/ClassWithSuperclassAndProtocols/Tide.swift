public final class TideView: UIView, TideObserving {
}
