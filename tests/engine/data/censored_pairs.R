# Writes censored_pairs.json: correlations of items of survey.csv and age, some of them censored at their
# extremes. Margins are those of censored.json (recomputed), thresholds normal quantiles; the correlation is the
# root of the derivative of the pair's log-likelihood, closed but for the probabilities of rectangles, which
# mvtnorm gives. Run in this folder.
library(mvtnorm)
d <- na.omit(read.csv("survey.csv")[, c("A1", "A4", "C5", "C3", "age")])
margin <- function(x, lower, upper) {
  lo <- if (lower) min(x) else -Inf; hi <- if (upper) max(x) else Inf
  u <- x[x > lo & x < hi]; nl <- sum(x <= lo); nu <- sum(x >= hi)
  score <- function(t) { s <- exp(t[2]); a <- (lo - t[1]) / s; b <- (hi - t[1]) / s; z <- (u - t[1]) / s
    la <- if (lower) dnorm(a) / pnorm(a) else 0; lb <- if (upper) dnorm(b) / pnorm(-b) else 0
    c(-nl * la + nu * lb + sum(z), -nl * (if (lower) a * la else 0) + nu * (if (upper) b * lb else 0) + sum(z^2 - 1)) }
  t <- c(mean(x), log(sd(x)))
  for (k in 1:100) { h <- 1e-6; J <- cbind(score(t + c(h, 0)) - score(t - c(h, 0)), score(t + c(0, h)) - score(t - c(0, h))) / (2 * h)
    t <- t - solve(J, score(t)) }
  stopifnot(max(abs(score(t))) < 1e-8)
  s <- exp(t[2])
  list(mean = t[1], sd = s, z = ifelse(x <= lo | x >= hi, NA, (x - t[1]) / s),
       low = ifelse(x >= hi, (hi - t[1]) / s, -Inf), high = ifelse(x <= lo, (lo - t[1]) / s, Inf))
}
ordinal <- function(x) { t <- c(-Inf, qnorm(cumsum(table(x)) / length(x))); t[length(t)] <- Inf; k <- as.integer(factor(x))
  list(z = rep(NA, length(x)), low = t[k], high = t[k + 1]) }
Pedge <- function(t, z, r) ifelse(is.finite(t), pnorm((t - r * z) / sqrt(1 - r^2)), t > 0)
dedge <- function(t, z, r) ifelse(is.finite(t), dnorm((t - r * z) / sqrt(1 - r^2)) * (t * r - z) / (1 - r^2)^1.5, 0)
dcorner <- function(x, y, r) if (is.finite(x) && is.finite(y)) dmvnorm(c(x, y), sigma = matrix(c(1, r, r, 1), 2)) else 0
corner <- function(x, y, r) if (min(x, y) == -Inf) 0 else if (max(x, y) == Inf) pnorm(min(x, y)) else
  pmvnorm(upper = c(x, y), corr = matrix(c(1, r, r, 1), 2), algorithm = TVPACK(1e-15))[1]
cells <- function(a, b, r, value) {
  key <- paste(a$low, a$high, b$low, b$high)[is.na(a$z) & is.na(b$z)]; sum(sapply(names(table(key)), function(k) {
    v <- as.numeric(strsplit(k, " ")[[1]]); p <- corner(v[2], v[4], r) - corner(v[1], v[4], r) - corner(v[2], v[3], r) + corner(v[1], v[3], r)
    s <- dcorner(v[2], v[4], r) - dcorner(v[1], v[4], r) - dcorner(v[2], v[3], r) + dcorner(v[1], v[3], r)
    sum(key == k) * s / p })) }
score <- function(a, b, r) {
  q <- 1 - r^2; pp <- !is.na(a$z) & !is.na(b$z); pa <- !is.na(a$z) & is.na(b$z); pb <- is.na(a$z) & !is.na(b$z)
  one <- function(z, low, high) sum((dedge(high, z, r) - dedge(low, z, r)) / (Pedge(high, z, r) - Pedge(low, z, r)))
  sum((r + (a$z * b$z * (1 + r^2) - r * (a$z^2 + b$z^2)) / q)[pp] / q) + one(a$z[pa], b$low[pa], b$high[pa]) +
    one(b$z[pb], a$low[pb], a$high[pb]) + if (any(is.na(a$z) & is.na(b$z))) cells(a, b, r) else 0
}
pair <- function(a, b) { r <- uniroot(function(r) score(a, b, r), c(-.9, .9), tol = 1e-15)$root; h <- 1e-5
  list(r = r, se_fixed_margins = sqrt(-2 * h / (score(a, b, r + h) - score(a, b, r - h)))) }
A1 <- margin(d$A1, TRUE, FALSE); A4 <- margin(d$A4, FALSE, TRUE); C5 <- margin(d$C5, TRUE, TRUE)
age <- margin(d$age, FALSE, FALSE); C3 <- ordinal((d$C3 - 1) %/% 2)
out <- list(n = nrow(d), margins = lapply(list(A1 = A1, A4 = A4, C5 = C5, age = age), function(m) m[c("mean", "sd")]),
            A1_age = pair(A1, age), C5_age = pair(C5, age), A1_A4 = pair(A1, A4), A4_C5 = pair(A4, C5), A1_C3 = pair(A1, C3), C5_C3 = pair(C5, C3))
cat(jsonlite::toJSON(out, auto_unbox = TRUE, digits = NA, pretty = TRUE), "\n", file = "censored_pairs.json", sep = "")
