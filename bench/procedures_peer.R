# procedures_peer.R [CASES] [VARIABLES]: seconds of R's functions that do the same as RG, LO, CR and
# PR, on data made as bench_engine_run makes them. The data are in memory; reading is not timed.
# polr gets a fifth of the cases.
a <- as.integer(commandArgs(TRUE))
n <- if (length(a) > 0) a[1] else 500000L
p <- if (length(a) > 1) a[2] else 10L
set.seed(3)
x <- matrix(rnorm(n * p), n) * sqrt(.7) + rnorm(n) * sqrt(.3)
colnames(x) <- paste0("x", seq_len(p))
y <- rowMeans(x) + rnorm(n)
d <- data.frame(x, y = y, binary = as.integer(y > .2), floor = pmax(y, -.8),
                ordered = ordered(findInterval(y, c(-1.2, -.4, .4, 1.2))))
rhs <- paste(colnames(x), collapse = " + ")
report <- function(name, job) cat(sprintf("%-28s %8.3f\n", name, system.time(job)[["elapsed"]]))
form <- function(y) as.formula(paste(y, "~", rhs))
report("lm", lm(form("y"), d))
report("glm, logit", glm(form("binary"), binomial("logit"), d))
report("glm, probit", glm(form("binary"), binomial("probit"), d))
if (requireNamespace("survival", quietly = TRUE)) {
  library(survival)
  report("survreg, censored below",
         survreg(as.formula(paste("Surv(floor, floor > -.8, type = 'left') ~", rhs)), d,
                 dist = "gaussian"))
}
if (requireNamespace("MASS", quietly = TRUE)) {
  small <- d[seq_len(n %/% 5L), ]
  report("polr, logistic, n / 5", MASS::polr(form("ordered"), small, Hess = TRUE))
  report("polr, probit, n / 5", MASS::polr(form("ordered"), small, method = "probit", Hess = TRUE))
}
