# bootstrap_peer.R FILE.csv: processor seconds that R takes for one bootstrap sample, a line "job
# package seconds" for each; bench_bootstrap runs it. A package that is not installed has no line.
d <- read.csv(commandArgs(TRUE)[1])
n <- nrow(d)
ten <- as.matrix(d[, seq_len(min(10, ncol(d)))])
frame <- as.data.frame(ten)
set.seed(5)
report <- function(job, package, times, work) {
  taken <- system.time(for (i in seq_len(times)) work(sample.int(n, replace = TRUE)))
  # Some packages work in processes of their own.
  cat(job, package, sum(taken[c("user.self", "sys.self", "user.child", "sys.child")]) / times, "\n")
}
installed <- function(package) requireNamespace(package, quietly = TRUE)
if (installed("lavaan")) {
  report("polychoric", "lavaan::lavCor", 3, function(i) {
    lavaan::lavCor(d[i, ], ordered = names(d), output = "cor")
  })
}
if (installed("psych")) {
  report("polychoric", "psych::polychoric", 1, function(i) psych::polychoric(d[i, ]))
  report("factors", "psych::fa", 20, function(i) {
    psych::fa(cor(ten[i, ]), 2, rotate = "varimax", n.obs = n, fm = "ml", warnings = FALSE)
  })
}
report("pearson", "cor", 300, function(i) cor(ten[i, ]))
report("factors", "factanal", 50, function(i) factanal(ten[i, ], 2))
form <- as.formula(paste(names(frame)[1], "~", paste(names(frame)[2:5], collapse = " + ")))
report("regression", "lm", 100, function(i) lm(form, frame[i, ]))
