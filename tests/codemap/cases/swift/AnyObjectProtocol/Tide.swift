protocol TideDelegate: AnyObject, Sendable {}
