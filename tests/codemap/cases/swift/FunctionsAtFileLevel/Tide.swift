func rise() {}
func fall(by amount: Int) -> Int { amount }
private func turn(_ tide: Tide, at time: Date = Date(), then done: @escaping () -> Void) {}
