# Writes censored.json: ML mean and standard deviation of items of survey.csv and attitude.csv censored at
# their extremes. survreg of R's survival package gives start and information matrix; Newton steps on the
# score then go on until it is below 1e-10 (survreg itself stops some 1e-7 short). Run in this folder.
library(survival)
one <- function(x, lower, upper) {
  x <- x[!is.na(x)]
  lo <- if (lower) min(x) else -Inf
  hi <- if (upper) max(x) else Inf
  n <- c(below = sum(x <= lo), above = sum(x >= hi))
  u <- x[x > lo & x < hi]
  loglik <- function(m, s) {
    n[["below"]] * (if (lower) pnorm(lo, m, s, log.p = TRUE) else 0) +
      n[["above"]] * (if (upper) pnorm(hi, m, s, lower.tail = FALSE, log.p = TRUE) else 0) +
      sum(dnorm(u, m, s, log = TRUE))
  }
  score <- function(m, s) {  # by m and log s
    a <- (lo - m) / s; b <- (hi - m) / s; z <- (u - m) / s
    la <- if (lower) dnorm(a) / pnorm(a) else 0; lb <- if (upper) dnorm(b) / pnorm(-b) else 0
    za <- if (lower) a * la else 0; zb <- if (upper) b * lb else 0
    c(-n[["below"]] * la / s + n[["above"]] * lb / s + sum(z) / s,
      -n[["below"]] * za + n[["above"]] * zb + sum(z^2 - 1))
  }
  type <- ifelse(x <= lo, 2, ifelse(x >= hi, 0, 1))
  y <- Surv(ifelse(type == 2, NA, x), ifelse(type == 0, NA, x), type = "interval2")
  f <- survreg(y ~ 1, dist = "gaussian", control = survreg.control(rel.tolerance = 1e-10))
  v <- f$var  # inverse of the observed information on m and log s
  t <- c(unname(coef(f)), log(f$scale))
  for (k in 1:50) t <- t + c(v %*% score(t[1], exp(t[2])))
  stopifnot(max(abs(score(t[1], exp(t[2])))) < 1e-10)
  list(n = length(x), below = n[["below"]], above = n[["above"]], mean = t[1], sd = exp(t[2]),
       se_mean = sqrt(v[1, 1]), se_sd = exp(t[2]) * sqrt(v[2, 2]), loglik = loglik(t[1], exp(t[2])))
}
b <- read.csv("survey.csv"); a <- read.csv("attitude.csv")
out <- list(A1_below = one(b$A1, TRUE, FALSE), A1_both = one(b$A1, TRUE, TRUE), A4_above = one(b$A4, FALSE, TRUE),
            C5_both = one(b$C5, TRUE, TRUE), learning_above = one(a$learning, FALSE, TRUE), rating_both = one(a$rating, TRUE, TRUE))
cat(jsonlite::toJSON(out, auto_unbox = TRUE, digits = NA, pretty = TRUE), "\n", file = "censored.json", sep = "")
