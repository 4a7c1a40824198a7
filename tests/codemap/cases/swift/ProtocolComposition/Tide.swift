protocol A: B, C & D {}
protocol E: AnyObject where F == G {}
