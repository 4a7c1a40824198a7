func fill(map: Map<Int, String> = Map<Int, String>(), next: Int = 0) {}
