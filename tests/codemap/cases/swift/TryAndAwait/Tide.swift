let a = try await load()
let b = try?
    load()
let c = await
    load()
let d = 1
