<html>
<head>
<meta http-equiv="Content-Type" content="text/html; charset=gb2312">
<title><%= Setting("WebSite_Title") %> - 管理登录</title>
<link rel="stylesheet" href="css/style.css" type="text/css">
<script type="text/javascript">
function reloadCode() {
  document.getElementById('verifyImage').src = 'inc/code.asp?t=' + new Date().getTime();
}
function checkLogin(form) {
  if (form.username.value == '') { alert('请输入管理帐号！'); form.username.focus(); return false; }
  if (form.password.value == '') { alert('请输入管理密码！'); form.password.focus(); return false; }
  if (!/^[0-9]{4}$/.test(form.verifyid.value)) { alert('请输入图片中的四位验证码！'); form.verifyid.focus(); return false; }
  return true;
}
</script>
</head>
<body class="login-page" onload="document.forms[0].username.focus()">
<div class="login-box">
  <h1><%= Setting("WebSite_Title") %></h1>
  <h2>管理后台登录</h2>
  <form accept-charset="gb18030" name="login" method="post" action="login.asp" onsubmit="return checkLogin(this)">
    <table class="form">
      <tr><th>管理帐号：</th><td><input type="text" name="username" id="username" maxlength="50" class="input"></td></tr>
      <tr><th>管理密码：</th><td><input type="password" name="password" id="password" maxlength="50" class="input"></td></tr>
      <tr><th>验 证 码：</th><td><input type="text" name="verifyid" id="verifyid" maxlength="4" size="6" class="input short" autocomplete="off">
        <img id="verifyImage" src="inc/code.asp" width="60" height="15" alt="验证码" title="看不清？点击换一张" onclick="reloadCode()" class="verify"></td></tr>
      <tr><th></th><td><input type="submit" value="登 录" class="button"> <input type="reset" value="重 填" class="button"></td></tr>
    </table>
  </form>
  <p class="hint">看不清验证码？点击图片换一张。</p>
</div>
</body>
</html>
