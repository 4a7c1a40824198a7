func fetch() async -> Int { 1 }
async let one = fetch()
async let two: Int = fetch()
let async = 3
