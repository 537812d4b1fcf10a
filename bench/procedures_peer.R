# procedures_peer.R FOLDER CASES VARIABLES: elapsed and processor seconds of R's functions that do the same as
# RG, LO, CR, PR and FA, a line "job function elapsed processor" for each; bench_procedures writes the data and
# runs it. The data are in memory; reading is not timed. polr gets a fifth of the cases. A package that is not
# installed has no line.
a <- commandArgs(TRUE)
n <- as.integer(a[2])
p <- as.integer(a[3])
cells <- readBin(file.path(a[1], "cells.bin"), "double", n * (p + 4))
d <- as.data.frame(matrix(cells, n, byrow = TRUE))
rm(cells)
x <- paste0("x", seq_len(p))
names(d) <- c(x, "y", "binary", "ordered", "floor")
form <- function(y) as.formula(paste(y, "~", paste(x, collapse = " + ")))
report <- function(job, name, times, work) {
  gc()
  taken <- sapply(seq_len(times), function(i) {
    t <- system.time(work())
    c(t[["elapsed"]], t[["user.self"]] + t[["sys.self"]])
  })
  cat(job, name, median(taken[1, ]), median(taken[2, ]), "\n")
}
installed <- function(package) requireNamespace(package, quietly = TRUE)
report("ols", "lm", 3, function() lm(form("y"), d))
report("logit", "glm", 3, function() glm(form("binary"), binomial("logit"), d))
report("probit", "glm", 3, function() glm(form("binary"), binomial("probit"), d))
if (installed("survival")) {
  library(survival)
  report("censored", "survival::survreg", 3, function() {
    survreg(as.formula(paste("Surv(floor, floor > -.8, type = 'left') ~", paste(x, collapse = " + "))), d,
            dist = "gaussian")
  })
}
if (installed("MASS")) {
  small <- d[seq_len(n %/% 5L), ]
  small$ordered <- ordered(small$ordered)
  report("ologit", "MASS::polr", 1, function() MASS::polr(form("ordered"), small, Hess = TRUE))
  report("oprobit", "MASS::polr", 1, function() {
    MASS::polr(form("ordered"), small, method = "probit", Hess = TRUE)
  })
}
r <- matrix(readBin(file.path(a[1], "factors.bin"), "double", 2500), 50)
many <- function(times, work) function() for (i in seq_len(times)) work()
each <- function(job, name, times, work) {
  t <- system.time(many(times, work)())
  cat(job, name, t[["elapsed"]] / times, (t[["user.self"]] + t[["sys.self"]]) / times, "\n")
}
each("ml", "factanal,promax", 10, function() factanal(covmat = r, factors = 5, n.obs = 2000, rotation = "promax"))
if (installed("psych")) {
  each("minres", "psych::fa,varimax", 5, function() psych::fa(r, 5, n.obs = 2000, rotate = "varimax", fm = "minres"))
}
