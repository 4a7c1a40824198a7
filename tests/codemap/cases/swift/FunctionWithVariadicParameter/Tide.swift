func log(_ items: Any..., separator: String = " ") {}
